#include "SmallPictures.h"

#include "ExifBlock.h"
#include "FileKinds.h"
#include "FileSource.h"
#include "JpegSegments.h"
#include "ReaderModules.h"

namespace SmallPictures {

std::optional<Picture> of(const QByteArray &path, int side)
{
    const FileSource file(path);
    if (!file.isOpen())
        return std::nullopt;
    const FileKinds::Kind kind = FileKinds::sniff(file.head()).kind;
    if (kind == FileKinds::Kind::Jpeg) {
        const ExifBlock::Thumbnail thumbnail = ExifBlock::thumbnail(JpegSegments::read(file, {true, false, false}).exif);
        if (thumbnail.jpeg.isEmpty())
            return std::nullopt;
        return Picture{thumbnail.jpeg, thumbnail.orientation, {}};
    }
    const ReaderModule::Api *heif = kind == FileKinds::Kind::Heif ? ReaderModules::load(ReaderModules::Module::Heif) : nullptr;
    Picture picture;
    if (!heif || !heif->readSmallPicture || !heif->readSmallPicture(file.descriptor(), side, picture.pixels))
        return std::nullopt;
    return picture;
}

} // namespace SmallPictures
