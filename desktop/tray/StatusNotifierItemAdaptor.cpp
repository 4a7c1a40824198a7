#include "desktop/tray/StatusNotifierItemAdaptor.h"

#include <QImage>
#include <QtEndian>

namespace navrel {

namespace {

/// Edge lengths of the pictures that are offered, for panels of usual and of high resolution.
constexpr int kPictureSizes[] = {22, 24, 32, 48, 64};

DBusPicture pictureOf(const QIcon& icon, int size) {
    const QImage image = icon.pixmap(size, size).toImage().convertToFormat(QImage::Format_ARGB32);
    DBusPicture picture{image.width(), image.height(), QByteArray()};
    picture.bytes.resize(image.sizeInBytes());
    qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, picture.bytes.data());
    return picture;
}

} // namespace

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(StatusNotifierItem& item)
    : QDBusAbstractAdaptor(&item), item_(item) {
    registerStatusNotifierTypes();
}

QDBusObjectPath StatusNotifierItemAdaptor::menu() const {
    return QDBusObjectPath(item_.menuPath());
}

DBusPictures StatusNotifierItemAdaptor::iconPixmap() const {
    DBusPictures pictures;
    for (const int size : kPictureSizes) {
        if (!item_.appearance().icon.isNull()) {
            pictures.append(pictureOf(item_.appearance().icon, size));
        }
    }
    return pictures;
}

void StatusNotifierItemAdaptor::ContextMenu(int x, int y) {
    item_.showMenuAt({x, y});
}

void StatusNotifierItemAdaptor::Activate(int x, int y) {
    item_.showMenuAt({x, y});
}

} // namespace navrel
