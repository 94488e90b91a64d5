#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

class QDialog;
class VTUiLoaderInterface;

/// A form of the host itself: loaded, frameless, and in the current skin as long as it lives. Its fixed texts follow the
/// language by themselves.
class SkinnedForm : public QObject
{
    Q_OBJECT

public:
    /// @param key a form that the host ships; without it the host cannot work and ends.
    SkinnedForm(VTUiLoaderInterface* loader, const QString& key, QObject* parent = nullptr);
    ~SkinnedForm() override;

    QWidget* Form() const { return m_form.get(); }

    /// @return the child of that name and type, which the form must have.
    template <typename Widget>
    Widget* Find(const char* name) const
    {
        auto* child = m_form->findChild<Widget*>(QLatin1String(name));
        Require(child, name);
        return child;
    }

    /// Shows the form, which must be a dialog, until it is closed. It stays in front of the window active now.
    /// @return true when it was accepted.
    bool Exec() const;

private:
    void Require(const void* found, const char* what) const;
    void Restyle();

    QPointer<VTUiLoaderInterface> m_loader;
    QString m_key;
    std::unique_ptr<QWidget> m_form;
};
