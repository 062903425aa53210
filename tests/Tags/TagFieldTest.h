#pragma once

#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "Tags/TagField.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

namespace tembra {

/// A tag field in a window of its own, over a journal with one meeting, and another place for the
/// keyboard.
class TagFieldTest
{
public:
    TagFieldTest()
        : meeting(journal.addSessionDaysAgo(journal.addCounterpart(QStringLiteral("Ana")), 1))
    {
        window = std::make_unique<QWidget>();
        window->resize(500, 400);
        field = new TagField(journal.context(), journal.clock);
        field->setWraps(true);
        field->setCreatesNewTags(true);
        elsewhere = new QLineEdit;
        auto *layout = new QVBoxLayout(window.get());
        layout->addWidget(elsewhere);
        layout->addWidget(field);
        layout->addStretch();
        journal.settle();
        elsewhere->setFocus();
        window->show();
    }

    std::shared_ptr<Tag> make(const QString &name, const QString &emoji = {}) const
    {
        const auto tag = journal.context().insert<Tag>();
        tag->setName(name);
        tag->setEmoji(emoji);
        journal.context().processPendingChanges();
        return tag;
    }
    /// As an input method or an emoji keyboard gives a text that no key stands for.
    void compose(const QString &text) const
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(field, &event);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(field, key, modifiers);
    }
    QStringList titles() const
    {
        QStringList titles;
        const auto tags = field->tags();
        for (const auto &tag : tags)
            titles.append(tag->titleString());
        return titles;
    }
    QStringList titlesOfMeeting() const
    {
        QStringList titles;
        const auto tags = meeting->sortedTags();
        for (const auto &tag : tags)
            titles.append(tag->titleString());
        return titles;
    }

    JournalFixture journal;
    std::shared_ptr<Session> meeting;
    std::unique_ptr<QWidget> window;
    TagField *field = nullptr;
    QLineEdit *elsewhere = nullptr;
};

} // namespace tembra
