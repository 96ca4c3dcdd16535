#pragma once

#include <QMdiArea>

namespace telvane {

// The main window's workspace: the child windows live here; while none covers it, the
// product's mark sits faintly in its middle instead of a bare grey field.
class Workspace final : public QMdiArea
{
    Q_OBJECT

public:
    explicit Workspace(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace telvane
