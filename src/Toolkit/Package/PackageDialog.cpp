#include "Toolkit/Package/PackageDialog.h"

#include "Toolkit/Alert.h"
#include "Toolkit/Package/PackageChoice.h"
#include "Toolkit/Package/PackageListModel.h"

#include <QAccessible>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// @p folder, or the one that the package it lies in lies in.
QString outsideOfPackages(const PackageType &type, const QString &folder)
{
    const QString package = type.packageAround(folder + "/any"_L1);
    return package.isEmpty() ? folder : QFileInfo(package).absolutePath();
}

QString startFolder(PackageDialog::Panel panel, const PackageType &type, const QString &startPath)
{
    const QString folder = panel == PackageDialog::Panel::Open
                               ? startPath
                               : QFileInfo(startPath).absolutePath();
    const QString outside = outsideOfPackages(type, folder);
    return QFileInfo(outside).isDir() ? outside : QDir::homePath();
}

std::optional<QString> run(PackageDialog *newDialog)
{
    // The parent may go while the dialog is open, and takes it along.
    const QPointer<PackageDialog> dialog = newDialog;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return {};
    const QString path = dialog->chosenPath();
    delete dialog;
    return accepted ? std::optional(path) : std::nullopt;
}

} // namespace

std::optional<QString> PackageDialog::getOpenPackage(QWidget *parent, const QString &title,
                                                     const PackageType &type,
                                                     const QString &startDirectory)
{
    return run(new PackageDialog(Panel::Open, type, title, startDirectory, parent));
}

std::optional<QString> PackageDialog::getSavePackage(QWidget *parent, const QString &title,
                                                     const PackageType &type,
                                                     const QString &suggestedPath)
{
    return run(new PackageDialog(Panel::Save, type, title, suggestedPath, parent));
}

PackageDialog::PackageDialog(Panel panel, const PackageType &type, const QString &title,
                             const QString &startPath, QWidget *parent)
    : QFileDialog(parent, title, startFolder(panel, type, startPath))
    , m_panel(panel)
    , m_type(type)
    , m_files(new PackageListModel(type, this))
{
    setObjectName(u"packageDialog"_s);
    setUpPanel();
    findParts();
    setUpModel();
    setUpMessage();
    takeDeletingAway();
    connectSignals();
    if (m_panel == Panel::Save)
        m_suggestedName = m_type.withSuffix(QFileInfo(startPath).fileName());
    m_nameEdit->setText(m_suggestedName);
    updateButton();
}

void PackageDialog::accept()
{
    const QString typed = m_nameEdit->text();
    if (typed.trimmed().isEmpty()) {
        activate(selectedIndex());
        return;
    }
    const PackageChoice choice = m_panel == Panel::Open
                                     ? PackageChoice::toOpen(m_type, directory(), typed)
                                     : PackageChoice::toSave(m_type, directory(), typed);
    switch (choice.kind) {
    case PackageChoice::Kind::Package:
        choose(choice.path);
        break;
    case PackageChoice::Kind::Replacement:
        askToReplace(choice.path);
        break;
    case PackageChoice::Kind::Folder:
        showFolder(choice.path);
        m_nameEdit->setText(m_suggestedName);
        break;
    case PackageChoice::Kind::Refusal:
        say(choice.sentence);
        break;
    }
}

void PackageDialog::activate(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    if (!m_files->isPackage(index)) {
        showFolder(PackageListModel::path(index));
        return;
    }
    m_nameEdit->setText(QFileInfo(PackageListModel::path(index)).fileName());
    accept();
}

void PackageDialog::takeSelection()
{
    // While a name is typed, the selection follows it, and not the other way round.
    const QModelIndex index = selectedIndex();
    if (index.isValid() && !m_nameEdit->hasFocus()) {
        const QString name = QFileInfo(PackageListModel::path(index)).fileName();
        if (m_files->isPackage(index) && name != m_nameEdit->text())
            m_nameEdit->setText(name);
        else if (!m_files->isPackage(index) && m_panel == Panel::Open)
            m_nameEdit->clear();
    }
    updateButton();
}

QModelIndex PackageDialog::selectedIndex() const
{
    const QModelIndexList rows = m_list->selectionModel()->selectedRows();
    return rows.isEmpty() ? QModelIndex() : rows.first();
}

/// Against QFileDialog, which takes packages for what they are: folders, of which none is a file to
/// open, and which are entered rather than saved at.
void PackageDialog::updateButton()
{
    m_acceptButton->setText(m_panel == Panel::Open ? tr("&Open", "Button of the open panel")
                                                   : tr("&Save", "Button of the save panel"));
    m_acceptButton->setEnabled(!m_nameEdit->text().trimmed().isEmpty()
                               || selectedIndex().isValid());
}

void PackageDialog::showEvent(QShowEvent *event)
{
    QFileDialog::showEvent(event);
    // Typing replaces the name and leaves the suffix.
    if (!m_suggestedName.isEmpty() && m_nameEdit->text() == m_suggestedName)
        m_nameEdit->setSelection(0, int(m_suggestedName.size() - m_type.suffix.size() - 1));
}

bool PackageDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_acceptButton && event->type() == QEvent::EnabledChange)
        updateButton();
    return QFileDialog::eventFilter(watched, event);
}

void PackageDialog::showFolder(const QString &path)
{
    setDirectory(path);
    // What can be opened lies in the folder that is shown; a name to save under goes along.
    if (m_panel == Panel::Open)
        m_nameEdit->clear();
}

/// Places, bookmarks and the history know nothing of packages.
void PackageDialog::leavePackage()
{
    const QString folder = directory().absolutePath();
    if (const QString outside = outsideOfPackages(m_type, folder); outside != folder)
        showFolder(outside);
}

void PackageDialog::say(const QString &sentence)
{
    m_message->setText(sentence);
    m_messageRow->setVisible(!sentence.isEmpty());
    if (sentence.isEmpty())
        return;
    m_nameEdit->selectAll();
    QAccessibleEvent alert(m_message, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void PackageDialog::askToReplace(const QString &path)
{
    const AlertContents question{.messageText = tr("%1 already exists. Do you want to replace it?",
                                                   "%1 is the quoted name of a package")
                                                    .arg(PackageChoice::quotedName(path)),
                                 .informativeText = tr("What it holds will be overwritten.",
                                                       "Said of a package that is to be replaced"),
                                 .buttons = {tr("Replace", "Button that overwrites a package"),
                                             tr("Cancel", "Button that leaves things as they are")},
                                 .firstButtonDestroys = true};
    Alert::beginSheet(question, this, [this, path](int button) {
        if (button == 0)
            choose(path);
    });
}

void PackageDialog::choose(const QString &path)
{
    m_chosenPath = path;
    done(Accepted);
}

} // namespace tembra
