#pragma once

#include "platform/qt/widgets/bus_object.h"
#include "platform/status_bar.h"

#include <QList>

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

    [[nodiscard]] QVariantList layout(int parent, int depth) const;
    [[nodiscard]] QList<int> ids() const;
    [[nodiscard]] const MenuItem* row(int id) const;
    [[nodiscard]] bool isThere(int id) const { return id == 0 || row(id) != nullptr; }
    [[nodiscard]] QVariantMap propertiesOf(int id) const;
    void take(int id, const QString& event);

    std::vector<MenuItem> rows_;
    int firstId_ = 1; ///< of the first row; the others follow. That of the menu itself is 0
    unsigned revision_ = 1;
};

} // namespace lumetry
