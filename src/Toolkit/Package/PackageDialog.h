#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QFileDialog>

#include <optional>

class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QTreeView;

namespace tembra {

class PackageListModel;

/// Asks for a package to open, or for the place of one to save. Packages are shown as single files:
/// nobody gets into them, and no other thing can be chosen.
///
/// What cannot be chosen is refused with a sentence in the dialog, which stays open. Object names:
/// "packageDialog", "packageMessage", and those of QFileDialog ("fileNameEdit", "listView" …).
class PackageDialog final : public QFileDialog
{
    Q_OBJECT

public:
    enum class Panel { Open, Save };

    /// @p startPath is the folder shown at first by an open panel, the suggested path of a save
    /// panel. Where that folder does not exist, the home folder is shown.
    PackageDialog(Panel panel, const PackageType &type, const QString &title,
                  const QString &startPath, QWidget *parent = nullptr);

    /// Absolute; empty as long as the dialog was not accepted.
    const QString &chosenPath() const { return m_chosenPath; }

    /// Both run the dialog and block until it is closed; nullopt when it was cancelled. A package to
    /// open exists; one to save may exist, and then the user has agreed to its being replaced.
    static std::optional<QString> getOpenPackage(QWidget *parent, const QString &title,
                                                 const PackageType &type,
                                                 const QString &startDirectory);
    static std::optional<QString> getSavePackage(QWidget *parent, const QString &title,
                                                 const PackageType &type,
                                                 const QString &suggestedPath);

protected:
    void accept() override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpPanel();
    void findParts();
    void setUpModel();
    void setUpColumns();
    void setUpMessage();
    void disableDeletion();
    void connectSignals();

    void activate(const QModelIndex &index);
    void takeSelection();
    QModelIndex selectedIndex() const;
    void updateButton();
    void showFolder(const QString &path);
    void leavePackage();
    void showMessage(const QString &sentence);
    void askToReplace(const QString &path);
    void choose(const QString &path);

    const Panel m_panel;
    const PackageType m_type;
    PackageListModel *m_files;
    QLineEdit *m_nameEdit = nullptr;
    QListView *m_list = nullptr;
    QTreeView *m_table = nullptr; ///< Shares its selection with the list.
    QPushButton *m_acceptButton = nullptr;
    QWidget *m_messageRow = nullptr;
    QLabel *m_message = nullptr;
    QString m_suggestedName; ///< Empty in an open panel.
    QString m_chosenPath;
};

} // namespace tembra
