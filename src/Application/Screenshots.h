#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QPalette;
class QWidget;

namespace tembra {

class AppDelegate;
class MainWindow;
class RecentEmoji;
class TagWindowController;

/// Leaves a picture of each window, and of what comes up over them, in a folder: in a light and in a
/// dark palette as users have them. Nothing in the journal changes.
class Screenshots : public QObject
{
    Q_OBJECT

public:
    explicit Screenshots(QString directory, QObject *parent = nullptr);
    ~Screenshots() override;

    /// Takes the pictures as soon as the windows are painted, then ends the program the usual way.
    void takeThenQuit(AppDelegate &delegate);

    /// True when a picture could not be taken or written.
    bool failed() const { return m_failed; }

private:
    /// Something to take a picture of.
    struct Scene
    {
        QString name;
        std::function<QWidget *()> show; ///< Returns what to take; null where it does not come up.
        std::function<void()> dismiss = [] {};
    };

    void take(AppDelegate &delegate);
    QList<Scene> scenes(AppDelegate &delegate);
    static QList<Scene> scenesOfTeammates(MainWindow &window);
    static Scene sceneOfCalendar(MainWindow &window);
    QList<Scene> scenesOfTags(MainWindow &window, TagWindowController &tags);
    void take(const QList<Scene> &scenes, const QPalette &palette, const QString &suffix);
    void take(const Scene &scene, const QString &fileName);

    QString m_directory;
    std::unique_ptr<RecentEmoji> m_recentEmoji; ///< None; nothing is chosen.
    bool m_failed = false;
};

} // namespace tembra
