#pragma once

#include <QDialog>

namespace telvane {

// `MenuAbout`: the product, its version and the libraries it runs on.
class About final : public QDialog
{
    Q_OBJECT

public:
    explicit About(QWidget *parent = nullptr);
};

} // namespace telvane
