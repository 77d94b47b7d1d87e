#pragma once

#include <QLabel>

// Fills its window with one of four background textures, chosen by the
// view's "tag" property in the interface file and stretched to the view on
// both axes.
class BackgroundView : public QLabel {
    Q_OBJECT
    Q_CLASSINFO("nomenClassName", "ROZ_BackgroundView")
    Q_PROPERTY(int tag READ tag WRITE setTag)
public:
    explicit BackgroundView(QWidget *parent = nullptr);

    int tag() const { return m_tag; }
    void setTag(int tag) { m_tag = tag; }

    // Once the file has loaded and the tag is set.
    void awakeFromNib();

    // The texture's image name for a tag: "grey_05" for any tag but 1 to 3.
    static QString imageNameForTag(int tag);
    QString imageName() const { return m_imageName; }

private:
    int m_tag = 0;
    QString m_imageName;
};
