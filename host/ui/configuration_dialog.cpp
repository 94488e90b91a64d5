#include "host/ui/configuration_dialog.h"

#include "host/settings/download_folder.h"
#include "host/settings/keep_days.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>

namespace {

struct Switch
{
    const char* box;
    const char* setting;
};

constexpr Switch Switches[] = {
    {"chkAutoDownload", "autodownload"},
    {"chkPopupFinish", "popupfinish"},
    {"chkSoundFinish", "soundfinish"},
    {"chkSetArgument", "setargument"},
};

} // namespace

ConfigurationDialog::ConfigurationDialog(
    VTUiLoaderInterface* loader, VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.configuration"))
    , m_settings(settings)
    , m_folder(m_form.Find<QLineEdit>("lneDownloadFolder"))
    , m_trouble(m_form.Find<QLabel>("lblFolderTrouble"))
    , m_keepDays(m_form.Find<QSpinBox>("spnKeepDays"))
{
    auto* dialog = qobject_cast<QDialog*>(Form());
    m_keepDays->setRange(0, KeepDays::Longest);
    connect(m_form.Find<QPushButton>("btnOk"), &QPushButton::clicked, this, &ConfigurationDialog::Accept);
    connect(m_form.Find<QPushButton>("btnClearFinished"), &QPushButton::clicked, this,
        &ConfigurationDialog::ClearFinishedRequested);
    connect(m_form.Find<QPushButton>("btnCancel"), &QPushButton::clicked, dialog, &QDialog::reject);
    connect(m_form.Find<QPushButton>("btnClose"), &QPushButton::clicked, dialog, &QDialog::reject);
    connect(m_form.Find<QPushButton>("btnBrowse"), &QPushButton::clicked, this, &ConfigurationDialog::Browse);
    connect(m_folder, &QLineEdit::textChanged, this, [this] {
        m_trouble->hide();
        m_form.Find<QPushButton>("btnOk")->setEnabled(QDir::isAbsolutePath(ChosenFolder()));
    });
}

void ConfigurationDialog::Run(const QString& userName)
{
    if (userName.isEmpty() || Form()->isVisible())
        return;
    Load(userName);
    const QPointer<ConfigurationDialog> alive(this);
    const bool accepted = m_form.Exec();
    if (alive && accepted)
        Store(userName);
}

/// A folder that cannot be written to is refused when it is chosen. One that was chosen earlier may be unavailable for
/// a while, and does not keep the user from changing the other settings.
void ConfigurationDialog::Accept()
{
    const QString trouble
        = ChosenFolder() == m_storedFolder ? QString() : DownloadFolder::Trouble(ChosenFolder());
    m_trouble->setText(tr("Nothing can be saved in this folder: %1.").arg(trouble));
    m_trouble->setVisible(!trouble.isEmpty());
    if (trouble.isEmpty())
        qobject_cast<QDialog*>(Form())->accept();
}

void ConfigurationDialog::Load(const QString& userName)
{
    for (const Switch& entry : Switches)
        m_form.Find<QCheckBox>(entry.box)->setChecked(
            m_settings->Value(SettingKeys::OfAccount(userName, entry.setting), 0).toBool());
    m_storedFolder = DownloadFolder::Of(m_settings, userName);
    m_folder->setText(QDir::toNativeSeparators(m_storedFolder));
    m_trouble->hide();
    m_keepDays->setValue(KeepDays::Of(m_settings, userName));
}

void ConfigurationDialog::Store(const QString& userName)
{
    for (const Switch& entry : Switches)
        m_settings->SetValue(
            SettingKeys::OfAccount(userName, entry.setting), m_form.Find<QCheckBox>(entry.box)->isChecked());
    // An unchanged folder is not stored, so that the default keeps following the desktop's folder.
    if (ChosenFolder() != DownloadFolder::Of(m_settings, userName))
        m_settings->SetValue(DownloadFolder::Key(userName), ChosenFolder());
    if (m_keepDays->value() != KeepDays::Of(m_settings, userName))
        m_settings->SetValue(KeepDays::Key(userName), m_keepDays->value());
}

QString ConfigurationDialog::ChosenFolder() const
{
    const QString text = m_folder->text().trimmed();
    return text.isEmpty() ? QString() : QDir::cleanPath(QDir::fromNativeSeparators(text));
}

void ConfigurationDialog::Browse()
{
    const QPointer<ConfigurationDialog> alive(this);
    const QString folder = QFileDialog::getExistingDirectory(Form(), tr("Download folder"), ChosenFolder());
    if (alive && !folder.isEmpty())
        m_folder->setText(QDir::toNativeSeparators(folder));
}
