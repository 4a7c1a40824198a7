#pragma once

#include <QString>

namespace navrel {

/// An entry of the status menu, as the project model sees it. Main thread.
class MenuItem {
public:
    virtual ~MenuItem() = default;

    virtual void setTitle(const QString& title) = 0;
    /// Shows the entry's check mark, or removes it.
    virtual void setChecked(bool checked) = 0;

protected:
    MenuItem() = default;
    MenuItem(const MenuItem&) = default;
    MenuItem& operator=(const MenuItem&) = default;
};

} // namespace navrel
