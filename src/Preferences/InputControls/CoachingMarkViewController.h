#pragma once

#include <QWidget>

class QLabel;

namespace tembra {

/// The content of a small explanatory popover: one text.
///
/// Shown in a `Popover` first; then the presenter sets the label's text.
class CoachingMarkViewController final : public QWidget
{
    Q_OBJECT

public:
    explicit CoachingMarkViewController(QWidget *parent = nullptr);

    QLabel *label;

private:
    void buildLayout();
};

} // namespace tembra
