#pragma once
// Helpers of the water column tests: console capture, scratch files, panel
// pictures and a file chooser installed for one test.
#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace envtest {

using zantest::CChooser;
using zantest::CConsole;
using zantest::CScratch;
using zantest::W;

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


}  // namespace envtest
