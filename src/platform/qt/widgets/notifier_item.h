#pragma once

#include "platform/qt/widgets/bus_object.h"
#include "platform/qt/widgets/notifier_menu.h"
#include "platform/qt/widgets/panel_color.h"
#include "platform/status_bar.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetry {

class NotifierTray;

/// An item in the tray of the session bus (StatusNotifierItem) whose menu the tray shows on a
/// click. On Wayland a program cannot place a menu of its own beside its icon.
class NotifierItem final : public StatusItem, private BusObject {
public:
    /// @param tray outlives it
    explicit NotifierItem(NotifierTray& tray);
    ~NotifierItem() override;
    NotifierItem(const NotifierItem&) = delete;
    NotifierItem& operator=(const NotifierItem&) = delete;

    void setImage(const TemplateImage& image) override;
    void setToolTip(const std::string& text) override;
    void setMenu(std::vector<MenuItem> menu) override;

private:
    [[nodiscard]] QVariantMap properties() const override;
    /// Answers none: the tray opens the menu itself.
    std::optional<QVariantList> call(const QString& /*method*/,
                                     const QVariantList& /*arguments*/) override {
        return std::nullopt;
    }
    void registerWithTray();

    NotifierTray& tray_;
    NotifierMenu menu_;
    PanelColor color_;
    std::optional<TemplateImage> image_;
    QString toolTip_;
};

} // namespace lumetry
