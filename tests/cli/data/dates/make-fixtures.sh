#!/bin/sh
# Makes photographs and recordings with known dates taken, as cameras and
# phones write them, with the tools a Debian system has for it (ImageMagick,
# exiftool, heif-enc, ffmpeg) and raws.pl beside this script for the camera
# raw formats no tool writes from nothing.
#   make-fixtures.sh DIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
out=$1
mkdir -p "$out"
cd "$out"

picture() { convert -size 16x16 xc:'#3366cc' "$1"; }
tag() { file=$1; shift; exiftool -q -q -overwrite_original "$@" "$file"; }

# Photographs: the wall clock, with and without the offset it was at.
picture jpeg_original.jpg
tag jpeg_original.jpg '-DateTimeOriginal=2019:07:04 01:30:00' '-CreateDate=2019:07:05 00:00:00'
picture jpeg_offset_east.jpg
tag jpeg_offset_east.jpg '-DateTimeOriginal=2019:07:04 01:30:00' '-OffsetTimeOriginal=+09:00'
picture jpeg_new_years_eve.jpg
tag jpeg_new_years_eve.jpg '-DateTimeOriginal=2021:12:31 23:15:00' '-OffsetTimeOriginal=-08:00'
picture jpeg_digitized_only.jpg
tag jpeg_digitized_only.jpg '-CreateDate=2018:02:03 04:05:06' '-OffsetTimeDigitized=+05:30'
picture jpeg_no_date.jpg
tag jpeg_no_date.jpg '-Make=Nomen'
# A damaged EXIF block: its first directory said to lie far past the end.
picture jpeg_damaged.jpg
tag jpeg_damaged.jpg '-DateTimeOriginal=2011:11:11 11:11:11'
perl -0777 -pi -e 's/(Exif\0\0(?:II\*\0|MM\0\*))..../$1\x7F\xFF\xFF\xF0/s or die "no EXIF block\n"' jpeg_damaged.jpg
picture tiff_original.tif
tag tiff_original.tif '-DateTimeOriginal=2016:01:02 03:04:05'
picture png_original.png
tag png_original.png '-DateTimeOriginal=2015:06:07 08:09:10'
picture webp_original.webp
tag webp_original.webp '-DateTimeOriginal=2014:11:12 13:14:15' '-OffsetTimeOriginal=+01:00'
# Phones: HEIC and AVIF carry the EXIF of the picture they are made from.
picture phone.jpg
tag phone.jpg '-DateTimeOriginal=2023:04:05 06:07:08' '-OffsetTimeOriginal=-07:00'
heif-enc -q 30 phone.jpg -o heic_phone.heic >/dev/null
heif-enc -A -q 30 phone.jpg -o avif_phone.avif >/dev/null
rm phone.jpg

# Camera raws, from a JPEG holding the same date for those that embed one.
picture raw.jpg
tag raw.jpg '-DateTimeOriginal=2017:05:06 07:08:09' '-OffsetTimeOriginal=+02:00'
perl "$here/raws.pl" . raw.jpg '2017:05:06 07:08:09' '+02:00'
rm raw.jpg

# Recordings: QuickTime's creation time in UTC, and a phone's own clock.
clip() {
  name=$1; shift
  ffmpeg -loglevel error -y -f lavfi -i color=c=blue:s=32x32:d=0.1 "$@" -c:v mpeg4 "$name"
}
clip mp4_utc.mp4 -metadata creation_time=2022-09-10T11:12:13Z
clip mov_utc.mov -metadata creation_time=2022-09-10T11:12:13Z
clip mov_phone.mov -metadata creation_time=2022-09-10T11:12:13Z \
  -movflags use_metadata_tags -metadata com.apple.quicktime.creationdate=2022-09-10T13:12:13+0200
clip m4v_leap_day.m4v -metadata creation_time=2020-02-29T23:30:00Z
ffmpeg -loglevel error -y -f lavfi -i color=c=blue:s=176x144:d=0.1 -c:v h263 \
  -metadata creation_time=2019-12-31T23:59:59Z 3gp_new_year.3gp
ffmpeg -loglevel error -y -f lavfi -i anullsrc=r=8000:cl=mono -t 0.1 -c:a aac \
  -metadata creation_time=2021-06-07T08:09:10Z m4a_voice.m4a
clip mp4_no_date.mp4

printf 'not a picture\n' > notes.txt
