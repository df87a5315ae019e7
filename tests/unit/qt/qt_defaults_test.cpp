#include "platform/qt/qt_defaults.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>

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
    for (const char* const key : {"true", "yes", "one", "less"}) {
        EXPECT_TRUE(defaults.boolForKey(key)) << key;
    }
    for (const char* const key :
         {"no", "off", "zero", "false", "word", "empty", "list", "absent"}) {
        EXPECT_FALSE(defaults.boolForKey(key)) << key;
    }
}

} // namespace
} // namespace lumetry
