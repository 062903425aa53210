#pragma once

#include "Toolkit/Alert.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace tembra {

using namespace Qt::StringLiterals;

/// Presses buttons of the alerts that come up while the program runs, and writes down their texts.
class AlertReader : public QObject
{
public:
    /// What to do with each alert in turn.
    using Answer = std::function<void(Alert &)>;

    AlertReader(QList<Answer> answers, QObject *parent)
        : QObject(parent)
        , m_answers(std::move(answers))
    {
        m_timer.setInterval(20);
        connect(&m_timer, &QTimer::timeout, this, &AlertReader::look);
        m_timer.start();
    }

    static Answer press(int button)
    {
        return [button](Alert &alert) {
            auto *found = alert.findChild<QPushButton *>(u"alertButton%1"_s.arg(button));
            QVERIFY(found);
            QTest::mouseClick(found, Qt::LeftButton);
        };
    }
    static Answer pressKey(Qt::Key key)
    {
        return [key](Alert &alert) { QTest::keyClick(&alert, key); };
    }

    /// Message and informative text of each alert.
    QStringList messages;
    QStringList informativeTexts;

private:
    /// A sheet counts as active as soon as its window is; on the screen, with its buttons in place, it
    /// may be later.
    static bool waitUntilActive(Alert &alert)
    {
        return QTest::qWaitForWindowExposed(&alert)
               && QTest::qWaitFor([&] { return QApplication::activeWindow() == &alert; });
    }

    static QString textOf(const Alert &alert, const QString &name)
    {
        const auto *label = alert.findChild<QLabel *>(name);
        return label ? label->text() : QString();
    }

    void look()
    {
        auto *alert = qobject_cast<Alert *>(QApplication::activeModalWidget());
        if (!alert || alert == m_last || !waitUntilActive(*alert))
            return;
        m_last = alert;
        messages.append(textOf(*alert, u"messageText"_s));
        informativeTexts.append(textOf(*alert, u"informativeText"_s));
        if (messages.size() <= m_answers.size())
            m_answers.at(messages.size() - 1)(*alert);
        else
            alert->reject();
    }

    QList<Answer> m_answers;
    QTimer m_timer;
    QPointer<Alert> m_last;
};

} // namespace tembra
