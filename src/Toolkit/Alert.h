#pragma once

#include <QDialog>

#include <functional>

class QPushButton;

namespace tembra {

/// What an alert says and offers.
struct AlertContents
{
    enum class Style { Informational, Warning, Critical };

    QString messageText;
    QString informativeText;
    QStringList buttons; ///< In the order in which they stand; at least one.
    bool firstButtonDestroys = false; ///< Then Return means the cancel button.
    int cancelButton = -1; ///< What Escape and closing mean; −1 is the last button.
    Style style = Style::Warning;
};

/// A question or message in a box of its own, in plain text, whose buttons stand in the listed order.
///
/// Escape is the cancel button. Return is the first button, unless that destroys something: then it
/// is the cancel button. Object names: "alert", "messageText", "informativeText", "alertButton0" …
class Alert final : public QDialog
{
    Q_OBJECT

public:
    /// Shows a sheet on @p window and returns at once; @p finished gets the pressed button's index.
    /// The alert deletes itself. When @p window goes first, nothing is called.
    static Alert *beginSheet(const AlertContents &contents, QWidget *window,
                             std::function<void(int buttonIndex)> finished);
    /// Shows a box that blocks the whole application until a button was pressed; returns its index.
    static int runModal(const AlertContents &contents, QWidget *parent = nullptr);

    QList<QPushButton *> buttons() const { return m_buttons; }

    void reject() override;

private:
    Alert(const AlertContents &contents, QWidget *parent);

    void buildLayout(const AlertContents &contents);
    QWidget *buildTexts(const AlertContents &contents);
    QWidget *buildButtons(const AlertContents &contents);
    void press(int buttonIndex);

    QList<QPushButton *> m_buttons;
    int m_cancelButton;
    int m_pressedButton;
};

} // namespace tembra
