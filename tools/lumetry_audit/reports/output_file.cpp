#include "lumetry_audit/reports/output_file.h"

#include <QSaveFile>

namespace lumetry {

bool writeFile(const std::filesystem::path& file, const std::string& contents,
               std::string& problem) {
    QSaveFile saved(QString::fromStdString(file.string()));
    // Devices and pipes cannot be replaced.
    saved.setDirectWriteFallback(true);
    const auto size = static_cast<qint64>(contents.size());
    if (saved.open(QIODevice::WriteOnly) && saved.write(contents.data(), size) == size &&
        saved.commit()) {
        return true;
    }
    problem = file.string() + " cannot be written: " + saved.errorString().toStdString() + ".";
    return false;
}

} // namespace lumetry
