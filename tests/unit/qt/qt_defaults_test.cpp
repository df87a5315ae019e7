#include "platform/qt/qt_defaults.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace lumetry {
namespace {

TEST(QtDefaults, OnlyWordsForYesAndNumbersAreTrue) {
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    ASSERT_TRUE(QDir(folder.path()).mkpath("lumetry"));
    std::ofstream(folder.filePath("lumetry/lumetry.conf").toStdString())
        << "[General]\ntrue=true\nyes= YES\none=1\nless=-0.5\n"
           "no=no\noff=off\nzero=0.0\nfalse=FALSE\nword=truest\nempty=\nlist=true, true\n";
    QtDefaults defaults;
    std::string yes;
    for (const char* const key : {"true", "yes", "one", "less", "no", "off", "zero", "false",
                                  "word", "empty", "list", "absent"}) {
        yes += defaults.boolForKey(key) ? std::string(key) + " " : "";
    }
    EXPECT_EQ(yes, "true yes one less ");
}

} // namespace
} // namespace lumetry
