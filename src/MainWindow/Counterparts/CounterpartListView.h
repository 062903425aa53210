#pragma once

#include <QListView>

namespace tembra {

/// The rows of the teammate list, worked with the keyboard as well as with the mouse.
class CounterpartListView final : public QListView
{
    Q_OBJECT

public:
    explicit CounterpartListView(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles) override;
};

} // namespace tembra
