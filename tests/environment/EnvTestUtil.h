#pragma once
// Helpers of the water column tests: console capture, scratch files, panel
// pictures and a file chooser installed for one test.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace envtest {

inline CString W(const std::string& s) { return CString::FromUtf8(s); }

// Collects the console lines reported while it lives.
class CConsole {
public:
    CConsole()
    {
        m_old = Zan::SetSink([this](Zan::Kind kind, unsigned long, int level, const CString& text) {
            if (kind == Zan::Kind::Console) {
                m_lines.push_back(text.Utf8());
                m_levels.push_back(level);
            }
        });
    }
    ~CConsole() { Zan::SetSink(m_old); }
    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;
    std::vector<std::string> m_lines;
    std::vector<int> m_levels;

private:
    Zan::Sink m_old;
};

// A scratch folder, removed with its content.
class CScratch {
public:
    CScratch()
    {
        static int s_n = 0;
        m_dir = std::filesystem::temp_directory_path() /
                ("zanenv_" + std::to_string(::getpid()) + "_" + std::to_string(++s_n));
        std::filesystem::create_directories(m_dir);
    }
    ~CScratch()
    {
        std::error_code ec;
        std::filesystem::remove_all(m_dir, ec);
    }
    CScratch(const CScratch&) = delete;
    CScratch& operator=(const CScratch&) = delete;
    std::string Path(const std::string& name) const { return (m_dir / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }

private:
    std::filesystem::path m_dir;
};

// Paints a panel to <name>.png: into $ZAN_PICTURE_DIR when that is set (the
// pictures stay to be looked at), else into a scratch folder. Checks that a
// PNG file came out.
inline void Picture(CZanWnd& panel, const std::string& name)
{
    CScratch scratch;
    const char* dir = std::getenv("ZAN_PICTURE_DIR");
    const std::string path = dir && *dir ? (std::filesystem::path(dir) / (name + ".png")).string()
                                         : scratch.Path(name + ".png");
    ASSERT_TRUE(panel.SavePicture(W(path)));
    std::ifstream f(path, std::ios::binary);
    char sig[8] = {};
    f.read(sig, 8);
    EXPECT_EQ(std::string(sig + 1, 3), "PNG") << path;
}

// Installs a file chooser for the life of the object, recording every
// dialog it is shown; it answers `path`, or declines when that is empty.
class CChooser {
public:
    explicit CChooser(std::string path) : m_path(std::move(path))
    {
        m_old = CFileDialog::SetChooser([this](const CFileDialog& dlg, CString& out) -> BOOL {
            m_dialogs.push_back(dlg);
            if (m_path.empty()) return FALSE;
            out = W(m_path);
            return TRUE;
        });
    }
    ~CChooser() { CFileDialog::SetChooser(m_old); }
    CChooser(const CChooser&) = delete;
    CChooser& operator=(const CChooser&) = delete;
    std::string m_path;
    std::vector<CFileDialog> m_dialogs;

private:
    CFileDialog::Chooser m_old;
};

}  // namespace envtest
