#pragma once

#include <QString>

namespace navrel {

/// An entry of the shell's menu, as far as the project model touches it. Main thread.
class MenuItem {
public:
    virtual ~MenuItem() = default;

    virtual void setTitle(const QString& title) = 0;
    /// Shows whether what the entry switches is on.
    virtual void setChecked(bool checked) = 0;

protected:
    MenuItem() = default;
    MenuItem(const MenuItem&) = default;
    MenuItem& operator=(const MenuItem&) = default;
};

} // namespace navrel
