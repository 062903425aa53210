#include "Toolkit/PackageDialog.h"

#include "Toolkit/Alert.h"
#include "Toolkit/PackageChoice.h"
#include "Toolkit/PackageListModel.h"

#include <QAccessible>
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
    : QFileDialog(parent, title)
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
    suggest(startPath);
    updateButton();
}

void PackageDialog::suggest(const QString &startPath)
{
    const QFileInfo start(startPath);
    const QString folder = m_panel == Panel::Open ? startPath : start.absolutePath();
    showFolder(QFileInfo(folder).isDir() ? folder : QDir::homePath());
    stayOutOfPackages(directory().absolutePath());
    if (m_panel == Panel::Open)
        return;
    m_suggestedName = m_type.withSuffix(start.fileName());
    m_nameEdit->setText(m_suggestedName);
    m_nameEdit->setSelection(0, int(m_suggestedName.size() - m_type.suffix.size() - 1));
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
        if (m_files->isPackage(index))
            m_nameEdit->setText(QFileInfo(PackageListModel::path(index)).fileName());
        else if (m_panel == Panel::Open)
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
void PackageDialog::stayOutOfPackages(const QString &folder)
{
    const QString package = m_type.packageAround(folder + "/any"_L1);
    if (!package.isEmpty())
        showFolder(QFileInfo(package).absolutePath());
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
