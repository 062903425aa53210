#pragma once

#include <QObject>

namespace tembra {

/// Keeps the colour of placeholders in the application's palette readable: derived from the text's,
/// whatever the desktop, a theme or a function gives, which may hardly be seen on the fields' ground.
/// Lives beside the QApplication.
class PlaceholderColor final : public QObject
{
    Q_OBJECT

public:
    explicit PlaceholderColor(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static void apply();
};

} // namespace tembra
