#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace tembra {

/// What stands in an empty place: what belongs there, a sentence, and the next step as a button.
class EmptyState final : public QWidget
{
    Q_OBJECT

public:
    /// Without @p buttonTitle (a verb) there is no button.
    explicit EmptyState(const QString &title, const QString &sentence,
                        const QString &buttonTitle = {}, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    void setSentence(const QString &sentence);
    void setButtonTitle(const QString &buttonTitle);
    QPushButton *button() const { return m_button; }

Q_SIGNALS:
    /// The button was pressed.
    void triggered();

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    void applyTheme();

    QLabel *m_title;
    QLabel *m_sentence;
    QPushButton *m_button;
};

} // namespace tembra
