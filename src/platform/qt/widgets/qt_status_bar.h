#pragma once

#include "platform/qt/widgets/trays.h"
#include "platform/status_bar.h"

#include <memory>

namespace lumetry {

class NotifierTray;

/// The tray: that of the session bus where there is one, else that of the X server. Items show up
/// when the first of either has come, and follow it when it restarts.
class QtStatusBar final : public StatusBar {
public:
    /// @param embeddingTray outlives it
    explicit QtStatusBar(EmbeddingTray& embeddingTray);
    ~QtStatusBar() override;
    QtStatusBar(const QtStatusBar&) = delete;
    QtStatusBar& operator=(const QtStatusBar&) = delete;

    [[nodiscard]] bool isPresent() override;
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override;

private:
    EmbeddingTray& embeddingTray_;
    std::unique_ptr<NotifierTray> notifierTray_;
};

} // namespace lumetry
