// 5,000 tags, all of which begin with the letter that is typed: what a tag field offers, and how soon
// it is painted.

#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Tags/RecentTagsViewController.h"
#include "Tags/TagCandidates.h"
#include "Tags/TagField.h"
#include "Toolkit/FieldPopover.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double completionLimit = 16;
constexpr double completionFactor = 2;
constexpr double popoverLimit = 30;

const QString prompt = u" (Create New Tag)"_s;

void makeTags(BenchmarkJournal &journal, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto tag = journal.context().insert<Tag>();
        tag->setName(u"theme number %1"_s.arg(i * 7919 % count));
        if (i % 3 == 0)
            tag->setEmoji(u"🎯"_s);
        tag->setLastUse(Date{double(i)});
    }
    require(journal.context().save().has_value(), "the tags are saved");
}

/// Until everything that was asked for is on the screen, windows of their own as well.
void paintWindows()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->isVisible())
            widget->repaint();
    }
}

class FieldBench
{
public:
    explicit FieldBench(BenchmarkJournal &journal)
    {
        const auto session = journal.context().insert<Session>();
        m_elsewhere = new QLineEdit;
        m_field = new TagField(journal.context(), journal.clock);
        m_field->setCreatesNewTags(true);
        m_field->setSession(session);
        auto *layout = new QVBoxLayout(&m_window);
        layout->addWidget(m_elsewhere);
        layout->addWidget(m_field);
        layout->addStretch();
        m_window.resize(600, 500);
        m_window.show();
        m_window.activateWindow();
        while (!m_window.isActiveWindow())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        leave();
    }

    void leave()
    {
        m_elsewhere->setFocus();
        paintWindows();
    }
    void focus()
    {
        m_field->setFocus();
        paintWindows();
        const auto *popover = m_window.findChild<FieldPopover *>();
        require(popover && popover->isVisible(), "the recent tags are shown");
    }
    void startTyping()
    {
        m_field->setObjectValue({});
        m_field->setFocus();
        type(u't');
        paintWindows();
    }
    void typeOn()
    {
        type(u'h');
        paintWindows();
        require(m_field->isCompletionListShown(), "completions are shown");
    }

private:
    void type(QChar character)
    {
        QKeyEvent press(QEvent::KeyPress, character.toUpper().unicode(), {}, QString(character));
        QCoreApplication::sendEvent(m_field, &press);
    }

    QWidget m_window;
    QLineEdit *m_elsewhere = nullptr;
    TagField *m_field = nullptr;
};

/// What is no less work: lowering and comparing each title once.
QStringList scanTitles(const QStringList &titles, const QString &typed)
{
    const QString lower = typed.toLower();
    QStringList found;
    for (const QString &title : titles) {
        if (title.toLower().startsWith(lower))
            found.append(title);
    }
    return found;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const int count = figures::isSmoke(argc, argv) ? 100 : 5'000;
    BenchmarkJournal journal(0);
    makeTags(journal, count);

    const auto tags = Tag::allTagsResultController(journal.context());
    require(tags->performFetch().has_value(), "the tags are fetched");
    const TagCandidates candidates(*tags);
    QStringList titles;
    const auto objects = tags->fetchedObjects();
    require(objects.has_value(), "the tags are read");
    for (const auto &object : *objects)
        titles.append(std::static_pointer_cast<Tag>(object)->titleString());

    FieldBench field(journal);
    const std::string among = ", " + std::to_string(count) + " tags";
    figures::compare(
        "find the completions" + among, [&] { candidates.completions(u"th"_s, {}, prompt); },
        [&] { scanTitles(titles, u"th"_s); }, completionFactor, 0);
    figures::limitPrepared(
        "completion list painted after a key" + among, [&] { field.startTyping(); },
        [&] { field.typeOn(); }, completionLimit);
    figures::limitPrepared(
        "first completion list painted" + among, [&] { field.leave(); },
        [&] { field.startTyping(); }, completionLimit);
    figures::limitPrepared(
        "recent tags painted after focus" + among, [&] { field.leave(); }, [&] { field.focus(); },
        popoverLimit);
    return figures::run(argc, argv);
}
