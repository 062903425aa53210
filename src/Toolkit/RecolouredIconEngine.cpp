#include "Toolkit/RecolouredIconEngine.h"

#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QColor colorFor(QIcon::Mode mode)
{
    const QPalette palette = QGuiApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::ButtonText);
    case QIcon::Selected:
        return palette.color(QPalette::HighlightedText);
    case QIcon::Normal:
    case QIcon::Active:
        break;
    }
    return palette.color(QPalette::ButtonText);
}

} // namespace

RecolouredIconEngine::RecolouredIconEngine(const QString &themeName, const QString &file)
    : m_themeName(QString(themeName + u"-symbolic"))
    , m_file(file)
{
}

/// The drawing at @p size device pixels, in whatever colour it comes.
QImage RecolouredIconEngine::shape(const QSize &size) const
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    if (QIcon::hasThemeIcon(m_themeName))
        QIcon::fromTheme(m_themeName).paint(&painter, image.rect());
    else
        QSvgRenderer(m_file).render(&painter, QRectF(image.rect()));
    return image;
}

QPixmap RecolouredIconEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State)
{
    QImage image = shape(size);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), colorFor(mode));
    painter.end();
    return QPixmap::fromImage(image);
}

QPixmap RecolouredIconEngine::scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state,
                                           qreal)
{
    return pixmap(size, mode, state);
}

void RecolouredIconEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode,
                                 QIcon::State state)
{
    const double ratio = painter->device()->devicePixelRatioF();
    QPixmap image = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
    image.setDevicePixelRatio(ratio);
    painter->drawPixmap(rect, image);
}

QString RecolouredIconEngine::key() const
{
    return u"RecolouredIconEngine"_s;
}

QIconEngine *RecolouredIconEngine::clone() const
{
    return new RecolouredIconEngine(*this);
}

} // namespace tembra
