#pragma once

#include <QWidget>

namespace telvane {

// The product's mark, name (`lblProductName`), version and description, as the splash
// and the About window show them.
class ProductHeader final : public QWidget
{
    Q_OBJECT

public:
    explicit ProductHeader(QWidget *parent = nullptr);
};

} // namespace telvane
