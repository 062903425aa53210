#pragma once

#include <QIconEngine>

namespace tembra {

/// A one-coloured drawing (SVG) painted in the text colour of the palette in use.
class RecolouredIconEngine final : public QIconEngine
{
public:
    /// @p themeName is looked up as the desktop theme's symbolic icon, else @p file is drawn.
    RecolouredIconEngine(const QString &themeName, const QString &file);

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override;
    QString key() const override;
    QIconEngine *clone() const override;

private:
    QImage shape(const QSize &size) const;

    QString m_themeName;
    QString m_file;
};

} // namespace tembra
