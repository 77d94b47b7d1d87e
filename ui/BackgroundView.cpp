#include "BackgroundView.h"

#include "ResourceFolder.h"

#include <QPixmap>

// A background takes whatever size its window has and never sets it.
BackgroundView::BackgroundView(QWidget *parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

QString BackgroundView::imageNameForTag(int tag)
{
    switch (tag) {
    case 1:
        return QStringLiteral("gbg_steele_05");
    case 2:
        return QStringLiteral("gbg_white_02");
    case 3:
        return QStringLiteral("gbg_grey_03");
    default:
        return QStringLiteral("grey_05");
    }
}

void BackgroundView::awakeFromNib()
{
    setScaledContents(true);
    m_imageName = imageNameForTag(m_tag);
    setPixmap(QPixmap(ResourceFolder::path() + QStringLiteral("/images/") + m_imageName + QStringLiteral(".png")));
}
