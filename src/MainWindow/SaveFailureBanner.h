#pragma once

#include <QWidget>

namespace tembra {

/// A line at the foot of the window that says that changes could not be saved, with a button that
/// tries again. Hidden as long as saving works.
class SaveFailureBanner final : public QWidget
{
    Q_OBJECT

public:
    explicit SaveFailureBanner(QWidget *parent = nullptr);

    void setFailing(bool failing);

Q_SIGNALS:
    void saveAgainRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void buildLayout();
};

} // namespace tembra
