#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace tembra {

class AppDelegate;

/// Leaves a picture of each window in a folder, in light and in dark colours.
class Screenshots : public QObject
{
    Q_OBJECT

public:
    explicit Screenshots(QString directory, QObject *parent = nullptr);

    /// Takes the pictures as soon as the windows are painted, then ends the program the usual way.
    void takeThenQuit(AppDelegate &delegate);

    /// True when a picture could not be written.
    bool failed() const { return m_failed; }

private:
    struct Picture
    {
        QWidget *window;
        QString name;
    };

    void take(AppDelegate &delegate);
    static QList<Picture> openWindows(AppDelegate &delegate);
    void take(QWidget &window, const QString &fileName);

    QString m_directory;
    bool m_failed = false;
};

} // namespace tembra
