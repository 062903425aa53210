#pragma once

#include <QWidget>

class QLabel;

namespace tembra {

/// The content of a small explanatory popover: one text.
class CoachingMarkViewController final : public QWidget
{
    Q_OBJECT

public:
    explicit CoachingMarkViewController(QWidget *parent = nullptr);

    /// Shows @p text in a transient popover below @p button.
    static void showBelow(QWidget &button, const QString &text);

    QLabel *label;

private:
    void buildLayout();
};

} // namespace tembra
