#include "Application/Screenshots.h"

#include "Application/AppDelegate.h"
#include "Application/WindowManager.h"
#include "Foundation/Logging.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/Session/SessionWindowController.h"
#include "Model/Session.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "Tags/TagField.h"
#include "Tags/TagsArrayController.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Emoji/EmojiPalette.h"
#include "Toolkit/Emoji/RecentEmoji.h"
#include "Toolkit/FieldPopover.h"
#include "Toolkit/Theme.h"
#include "Toolkit/WindowActivation.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPixmap>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <chrono>

namespace tembra {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// As long as popovers take to come up.
constexpr auto settlingTime = 250ms;
/// For a window to become the active one.
constexpr auto activationTimeout = 2s;

struct PaletteColors
{
    QColor window;
    QColor base;
    QColor text;
    QColor highlight;
};

/// As a desktop gives it: the roles that users choose, and what follows from them.
QPalette paletteOf(const PaletteColors &colors)
{
    QPalette palette(colors.window, colors.window);
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::AlternateBase, theme::mixed(colors.base, colors.text, 0.04));
    palette.setColor(QPalette::Highlight, colors.highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, colors.text);
        palette.setColor(QPalette::Disabled, role, theme::mixed(colors.text, colors.base, 0.62));
    }
    return palette;
}

QPalette lightPalette()
{
    return paletteOf({QColor(0xf5, 0xf4, 0xf2), QColor(0xff, 0xff, 0xff), QColor(0x22, 0x23, 0x26),
                      QColor(0x35, 0x84, 0xe4)});
}

QPalette darkPalette()
{
    return paletteOf({QColor(0x27, 0x28, 0x2b), QColor(0x1d, 0x1e, 0x20), QColor(0xe6, 0xe7, 0xe9),
                      QColor(0x3d, 0x7e, 0xdb)});
}

template<typename Condition>
void waitFor(const Condition &condition, std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
}

void settle()
{
    waitFor([] { return false; }, settlingTime);
}

void activate(QWidget &window)
{
    bringToFront(window);
    waitFor([&] { return window.isActiveWindow(); }, activationTimeout);
}

void press(QWidget &widget, Qt::Key key, const QString &text = {})
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(&widget, &event);
    }
}

/// Waits for the visible child, or window, of this kind; null when none comes.
template<typename Widget>
Widget *shown(const QString &name)
{
    Widget *found = nullptr;
    waitFor(
        [&] {
            for (QWidget *widget : QApplication::allWidgets()) {
                auto *candidate = qobject_cast<Widget *>(widget);
                if (candidate && candidate->isVisible() && candidate->objectName() == name)
                    found = candidate;
            }
            return found != nullptr;
        },
        activationTimeout);
    return found;
}

void closePopup()
{
    if (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
}

/// A list paints its emoji a moment after everything else, the first time.
QPixmap pictureOf(QWidget &widget)
{
    (void)widget.grab();
    QCoreApplication::processEvents();
    return widget.grab();
}

/// What to type so that something is offered.
QString firstLetterOfATag(const TagWindowController &tags)
{
    const TagsArrayController &list = *tags.tagsArrayController;
    const QString name = list.index(0, TagsArrayController::NameColumn).data().toString();
    return !name.isEmpty() && name.front().isLetter() ? name.first(1) : u"a"_s;
}

void trigger(QWidget &window, const QString &actionName)
{
    if (auto *action = window.findChild<QAction *>(actionName))
        action->trigger();
}

} // namespace

Screenshots::Screenshots(QString directory, QObject *parent)
    : QObject(parent)
    , m_directory(std::move(directory))
    , m_recentEmoji(std::make_unique<RecentEmoji>(m_directory + u"/recent.ini"_s))
{
}

Screenshots::~Screenshots() = default;

void Screenshots::takeThenQuit(AppDelegate &delegate)
{
    // A turn of the event loop with nothing left to do has laid everything out.
    QTimer::singleShot(0, this, [this, &delegate] {
        take(delegate);
        delegate.terminate();
    });
}

void Screenshots::take(AppDelegate &delegate)
{
    if (!QDir().mkpath(m_directory)) {
        m_failed = true;
        qCWarning(applicationLog, "Could not make the folder for the screenshots.");
        return;
    }
    const QPalette usual = QApplication::palette();
    const QList<Scene> all = scenes(delegate);
    take(all, lightPalette(), u"-light.png"_s);
    take(all, darkPalette(), u"-dark.png"_s);
    QApplication::setPalette(usual);
}

/// Each window the program has, showing as much as the journal has for it, and what comes up over it.
QList<Screenshots::Scene> Screenshots::scenes(AppDelegate &delegate)
{
    MainWindow &window = *delegate.window();
    TagWindowController &tags = delegate.tagsWindowController();
    delegate.counterpartsViewController()->counterpartsArrayController().setSelectionIndex(0);
    tags.show();
    if (tags.tagsArrayController->rowCount() > 0)
        tags.tagsArrayController->setSelectionIndex(0);
    QList<Scene> scenes{{u"main-window"_s, [&] { return &window; }},
                        {u"tags-window"_s, [&] { return &tags; }}};
    if (delegate.counterpartsViewController()->counterpartsArrayController().rowCount() > 0)
        scenes += scenesOfTeammates(window);
    if (const auto session = window.detailPaneViewController().selectedSession()) {
        delegate.windowManager().open(session);
        SessionWindowController &meeting = delegate.windowManager().windowController(session);
        scenes.append({u"meeting-window"_s, [&] { return &meeting; }});
        if (session->date())
            scenes += sceneOfCalendar(window);
        if (tags.tagsArrayController->rowCount() > 0)
            scenes += scenesOfTags(window, tags);
    }
    return scenes;
}

QList<Screenshots::Scene> Screenshots::scenesOfTeammates(MainWindow &window)
{
    auto *search = window.findChild<QLineEdit *>(u"searchField"_s);
    const Scene nothingFound{u"nothing-found"_s,
                             [=, &window]() -> QWidget * {
                                 search->setText(u"a text that no note has"_s);
                                 return &window;
                             },
                             [=] { search->clear(); }};
    const Scene alert{u"alert"_s,
                      [&window]() -> QWidget * {
                          activate(window);
                          trigger(window, u"deleteTeammatesAction"_s);
                          return shown<Alert>(u"alert"_s);
                      },
                      [] {
                          if (auto *open = qobject_cast<Alert *>(QApplication::activeModalWidget()))
                              open->reject();
                      }};
    return {nothingFound, alert};
}

Screenshots::Scene Screenshots::sceneOfCalendar(MainWindow &window)
{
    return {u"calendar"_s,
            [&window]() -> QWidget * {
                activate(window);
                press(*window.findChild<QLineEdit *>(u"dateField"_s), Qt::Key_F4);
                return shown<Popover>(u"popover"_s);
            },
            closePopup};
}

QList<Screenshots::Scene> Screenshots::scenesOfTags(MainWindow &window, TagWindowController &tags)
{
    auto *field = window.findChild<TagField *>(u"tagField"_s);
    const auto enterField = [&window, field] {
        activate(window);
        field->setFocus();
    };
    const auto leaveField = [&window] { window.setFocus(); };
    const Scene recentTags{u"recent-tags"_s,
                           [=, &window]() -> QWidget * {
                               enterField();
                               return shown<FieldPopover>(u"popover"_s) ? &window : nullptr;
                           },
                           leaveField};
    const Scene completions{u"completion-list"_s,
                            [=, &tags]() -> QWidget * {
                                enterField();
                                press(*field, Qt::Key_unknown, firstLetterOfATag(tags));
                                auto *list = shown<QListView>(u"completions"_s);
                                return list ? list->parentWidget() : nullptr;
                            },
                            [=] {
                                // Nothing is left that could become a tag.
                                press(*field, Qt::Key_Escape);
                                press(*field, Qt::Key_Backspace);
                                leaveField();
                            }};
    const Scene palette{u"emoji-palette"_s,
                        [this, &tags]() -> QWidget * {
                            activate(tags);
                            return EmojiPalette::orderFrontCharacterPalette(&tags, *m_recentEmoji,
                                                                            [](const QString &) {});
                        },
                        closePopup};
    return {recentTags, completions, palette};
}

void Screenshots::take(const QList<Scene> &scenes, const QPalette &palette, const QString &suffix)
{
    QApplication::setPalette(palette);
    for (const Scene &scene : scenes)
        take(scene, scene.name + suffix);
}

void Screenshots::take(const Scene &scene, const QString &fileName)
{
    const QPointer<QWidget> widget = scene.show();
    settle();
    const QString file = QDir(m_directory).filePath(fileName);
    if (!widget || !widget->isVisible() || !pictureOf(*widget).save(file)) {
        m_failed = true;
        qCWarning(applicationLog, "Could not take the screenshot %s.", qUtf8Printable(fileName));
    }
    scene.dismiss();
    settle();
}

} // namespace tembra
