#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

class QDialog;
class VTUiLoaderInterface;

/// A form of the host itself, without a frame and always in the current skin. Its fixed texts follow the language.
class SkinnedForm : public QObject
{
    Q_OBJECT

public:
    /// @param key of a form that is built into the host. The program aborts if it is missing.
    SkinnedForm(VTUiLoaderInterface* loader, const QString& key, QObject* parent = nullptr);
    ~SkinnedForm() override;

    QWidget* Form() const { return m_form.get(); }

    /// @return the child of that name and type. The program aborts if the form has none.
    template <typename Widget>
    Widget* Find(const char* name) const
    {
        auto* child = m_form->findChild<Widget*>(QLatin1String(name));
        Require(child, name);
        return child;
    }

    /// Shows the form, which must be a dialog, in front of the active window until it is closed.
    /// @return whether it was accepted.
    bool Exec() const;

    /// Shows the form in front of the active window and returns at once.
    void Open() const;

private:
    void Require(const void* found, const char* what) const;
    void Restyle();
    void StayOver(const QWidget* window) const;

    QPointer<VTUiLoaderInterface> m_loader;
    QString m_key;
    std::unique_ptr<QWidget> m_form;
};
