#include "Platform/X11/StatusNotifierItem.h"

#include "Platform/X11/Images.h"

#include <QDBusMetaType>
#include <QtEndian>

#include <fmt/format.h>

#include <unistd.h>

namespace quillon::x11 {

// Qt finds the operators by the types' namespace.

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

namespace {

constexpr auto itemPath = "/StatusNotifierItem";
constexpr auto menuObjectPath = "/StatusNotifierItem/Menu";

/// The sides of panels' icons on ordinary and dense screens, so that no panel has to scale.
constexpr std::array iconSides{16, 22, 24, 32, 44, 48, 64};

NotifierPixmap pixmapOf(const QImage& drawn) {
    const auto picture = drawn.convertToFormat(QImage::Format_ARGB32);
    NotifierPixmap pixmap{picture.width(), picture.height(), QByteArray(picture.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(picture.constBits(), picture.width() * picture.height(), pixmap.bytes.data());
    return pixmap;
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const std::string& name)
    : bus(QDBusConnection::sessionBus()), itemName(QString::fromStdString(name)),
      serviceName(QString::fromStdString(fmt::format("org.kde.StatusNotifierItem-{}-1", getpid()))) {
    qDBusRegisterMetaType<NotifierPixmap>();
    qDBusRegisterMetaType<NotifierPixmaps>();
    qDBusRegisterMetaType<NotifierToolTip>();
    constexpr auto everything =
        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals;
    // The objects come first: whoever sees the name may ask them.
    bus.registerObject(menuObjectPath, &menuObject, everything);
    bus.registerObject(itemPath, this, everything);
    bus.registerService(serviceName);
}

StatusNotifierItem::~StatusNotifierItem() {
    bus.unregisterService(serviceName);
    bus.unregisterObject(itemPath);
    bus.unregisterObject(menuObjectPath);
}

void StatusNotifierItem::setImage(std::shared_ptr<Image> newImage, Appearance newAppearance) {
    image = std::move(newImage);
    appearance = newAppearance;
    Q_EMIT NewIcon();
}

void StatusNotifierItem::setToolTip(const std::string& text) {
    toolTipText = QString::fromStdString(text);
    Q_EMIT NewTitle();
    Q_EMIT NewToolTip();
}

NotifierPixmaps StatusNotifierItem::iconPixmap() const {
    NotifierPixmaps pixmaps;
    if (image) {
        for (const int side : iconSides) {
            pixmaps.push_back(pixmapOf(render(*image, QSize(side, side), appearance)));
        }
    }
    return pixmaps;
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
    return QDBusObjectPath(menuObjectPath);
}

void StatusNotifierItem::Activate(int /*x*/, int /*y*/) {
    if (onClick) {
        onClick();
    }
}

void StatusNotifierItem::SecondaryActivate(int /*x*/, int /*y*/) {}

void StatusNotifierItem::ContextMenu(int x, int y) {
    Activate(x, y);
}

void StatusNotifierItem::Scroll(int /*delta*/, const QString& /*orientation*/) {}

} // namespace quillon::x11
