// Every input kept under fuzz/corpus/<target>/ (the seeds and each input that
// ever made a fuzz target fail) runs through its entry here, in every test
// tree: a fault once found and fixed cannot come back unnoticed.
#include "fuzz/FuzzTargets.h"

#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path kCorpus = fs::path(ZAN_SOURCE_DIR) / "fuzz" / "corpus";

struct Finding : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class CorpusReplay : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override
    {
        m_oldSink = Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
        zanfuzz::SetFailHandler([](const std::string& what) { throw Finding(what); });
    }
    void TearDown() override
    {
        zanfuzz::SetFailHandler(nullptr);
        Zan::SetSink(m_oldSink);
    }
    Zan::Sink m_oldSink;
};

std::vector<std::string> TargetNames()
{
    size_t n = 0;
    const zanfuzz::Target* t = zanfuzz::Targets(n);
    std::vector<std::string> names;
    for (size_t i = 0; i < n; ++i) names.emplace_back(t[i].name);
    return names;
}

std::vector<unsigned char> ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST_P(CorpusReplay, EveryKeptInputPasses)
{
    const std::string name = GetParam();
    const zanfuzz::Entry fn = zanfuzz::Find(name.c_str());
    ASSERT_NE(fn, nullptr);
    const fs::path dir = kCorpus / name;
    ASSERT_TRUE(fs::is_directory(dir)) << "no seeds for " << name;
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(dir))
        if (e.is_regular_file()) files.push_back(e.path());
    std::sort(files.begin(), files.end());
    EXPECT_FALSE(files.empty());
    for (const fs::path& f : files) {
        const std::vector<unsigned char> data = ReadAll(f);
        try {
            fn(data.data(), data.size());
        } catch (const Finding& e) {
            ADD_FAILURE() << f.filename().string() << ": " << e.what();
        } catch (const std::exception& e) {
            ADD_FAILURE() << f.filename().string() << ": escaped " << e.what();
        }
    }
    CTgtImg::CleanupStatic();
}

INSTANTIATE_TEST_SUITE_P(Fuzz, CorpusReplay, ::testing::ValuesIn(TargetNames()),
                         [](const ::testing::TestParamInfo<std::string>& i) { return i.param; });

TEST(CorpusLayout, EveryCorpusFolderHasItsTarget)
{
    const std::vector<std::string> names = TargetNames();
    const std::set<std::string> known(names.begin(), names.end());
    for (const auto& e : fs::directory_iterator(kCorpus)) {
        if (!e.is_directory()) continue;
        EXPECT_TRUE(known.count(e.path().filename().string())) << e.path();
    }
}

}  // namespace
