#pragma once

#include "platform/qt/widgets/bus_object.h"
#include "platform/status_bar.h"

#include <vector>

namespace lumetry {

/// A menu that the tray shows itself (com.canonical.dbusmenu): it asks for the rows and tells which
/// one was chosen.
class NotifierMenu final : public BusObject {
public:
    explicit NotifierMenu(const QString& path);

    void setRows(std::vector<MenuItem> rows);

private:
    [[nodiscard]] QVariantMap properties() const override;
    std::optional<QVariantList> call(const QString& method, const QVariantList& arguments) override;

    [[nodiscard]] QVariantList layout(int parent) const;
    [[nodiscard]] QVariantMap propertiesOf(int id) const;
    void choose(int id);

    std::vector<MenuItem> rows_; ///< the first one's number is 1; that of the menu itself is 0
    unsigned revision_ = 1;
};

} // namespace lumetry
