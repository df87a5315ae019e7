#include "lumetry_audit/reports/files.h"

#include <QFile>
#include <QSaveFile>

#include <system_error>

namespace lumetry {
namespace {

/// Whether there is nothing yet, or what can be replaced by another file.
bool isReplaceable(const std::filesystem::path& file) {
    std::error_code unclear;
    const auto type = std::filesystem::symlink_status(file, unclear).type();
    return type == std::filesystem::file_type::not_found ||
           type == std::filesystem::file_type::regular;
}

bool write(QFileDevice& device, const std::string& contents) {
    const auto size = static_cast<qint64>(contents.size());
    return device.write(contents.data(), size) == size && device.flush();
}

} // namespace

std::optional<std::string> readFile(const std::filesystem::path& file) {
    QFile source(QString::fromStdString(file.string()));
    if (!source.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const std::string text = source.readAll().toStdString();
    return source.error() == QFileDevice::NoError ? std::optional(text) : std::nullopt;
}

bool writeFile(const std::filesystem::path& file, const std::string& contents,
               std::string& problem) {
    const QString name = QString::fromStdString(file.string());
    QSaveFile replacement(name);
    // Where the folder takes no new files.
    replacement.setDirectWriteFallback(true);
    QFile existing(name);
    const bool replaced = isReplaceable(file);
    QFileDevice& device = replaced ? static_cast<QFileDevice&>(replacement) : existing;
    if (device.open(QIODevice::WriteOnly) && write(device, contents) &&
        (!replaced || replacement.commit())) {
        return true;
    }
    problem = file.string() + " cannot be written: " + device.errorString().toStdString() + ".";
    return false;
}

} // namespace lumetry
