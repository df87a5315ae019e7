#pragma once

#include <QDBusVirtualObject>
#include <QString>
#include <QVariant>

#include <optional>

namespace lumetry {

/// An object of one interface on the session bus that Qt shares. It is there as long as this is.
class BusObject : public QDBusVirtualObject {
public:
    BusObject(QString path, QString interface);
    ~BusObject() override;
    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

protected:
    [[nodiscard]] const QString& path() const { return path_; }
    void sendSignal(const QString& name, const QVariantList& arguments = {}) const;

private:
    [[nodiscard]] virtual QVariantMap properties() const = 0;
    /// What a method answers; absent where there is none of that name.
    virtual std::optional<QVariantList> call(const QString& method,
                                             const QVariantList& arguments) = 0;

    QString path_;
    QString interface_;
};

} // namespace lumetry
