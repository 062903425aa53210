#pragma once

#include <QSettings>
#include <QSize>
#include <QString>

class QSplitter;
class QWidget;

namespace tembra {

/// Where windows stood and how they were divided, from one start to the next. Kept in a file of its
/// own, apart from the user's settings.
class WindowState
{
public:
    explicit WindowState(const QString &file);

    /// Puts a window where it was, as far as the screens there are now allow: it always lies on one
    /// of them as a whole. Without a (readable) record it gets the default size, or what the screen
    /// has. Call before it is shown.
    void restoreWindow(const QString &name, QWidget &window, QSize defaultSize) const;
    void saveWindow(const QString &name, const QWidget &window);

    /// Divides a splitter as it was; without a (readable) record in the proportion of @p defaultSizes.
    void restoreSplit(const QString &name, QSplitter &splitter,
                      const QList<int> &defaultSizes) const;
    void saveSplit(const QString &name, const QSplitter &splitter);

private:
    mutable QSettings m_settings;
};

} // namespace tembra
