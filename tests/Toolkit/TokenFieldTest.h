#pragma once

#include "support/GuiTest.h"
#include "WordField.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

/// The base of tests of a token field: a window with a field of words that has the keyboard, and
/// another field below it.
class TokenFieldTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_window->setGeometry(300, 200, 500, 300);
        m_field = new WordField;
        m_other = new QLineEdit;
        auto *layout = new QVBoxLayout(m_window.get());
        layout->addWidget(m_field);
        layout->addWidget(m_other);
        layout->addStretch(1);
        m_window->QWidget::show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_field->setFocus();
        QTRY_VERIFY(m_field->hasFocus());
    }

    void cleanup() { m_window.reset(); }

protected:
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_field, key, modifiers);
    }

    std::unique_ptr<QWidget> m_window;
    WordField *m_field = nullptr;
    QLineEdit *m_other = nullptr;
};
