#!/usr/bin/python3
"""Photographs, music and recordings with known metadata, and what the tools
trusted for each kind read in them.

  metadata_fixtures.py make DIR    makes the files: pictures with ImageMagick
                                   and exiftool, sound and video with ffmpeg,
                                   music tags written by mutagen in the
                                   encodings tags declare
  metadata_fixtures.py expect DIR  prints, as JSON, each file's values as
                                   exiftool (photographs), exiv2 (tags by key),
                                   ffprobe (lengths, picture sizes) and mutagen
                                   (music tags) read them, in the forms names
                                   show them

The forms: f-numbers as "f2.8" (no ".0"), exposures as exiftool prints them,
focal lengths as "35mm", tracks of at least two digits, years of four,
lengths in whole seconds as "m.ss" or "h.mm.ss"; in a name "/" becomes "_"
and control characters go."""

import json
import os
import subprocess
import sys
import tempfile

from mutagen.flac import FLAC
from mutagen.id3 import ID3, TALB, TCON, TDRC, TIT2, TPE1, TPE2, TPOS, TRCK, TYER
from mutagen.mp4 import MP4
from mutagen.oggopus import OggOpus
from mutagen.oggvorbis import OggVorbis
import mutagen


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)


def picture(path, size="64x48"):
    run("convert", "-size", size, "xc:#3366cc", path)


def tag(path, *assignments):
    run("exiftool", "-q", "-q", "-overwrite_original", *assignments, path)


def sound(path, seconds, *codec):
    run("ffmpeg", "-loglevel", "error", "-y", "-f", "lavfi", "-i", f"sine=frequency=440:sample_rate=8000:duration={seconds}",
        "-ac", "1", *codec, path)


def video(path, size, seconds, *more):
    run("ffmpeg", "-loglevel", "error", "-y", "-f", "lavfi", "-i", f"color=c=blue:s={size}:r=1:d={seconds}",
        "-g", "100000", *more, path)


def make(folder):
    os.makedirs(folder, exist_ok=True)
    os.chdir(folder)

    # Photographs as cameras write them, and as editors leave them.
    picture("camera.jpg")
    tag("camera.jpg", "-Make=Canon", "-Model=Canon EOS 5D Mark IV", "-LensModel=EF24-70mm f/2.8L II USM", "-ISO=400",
        "-FNumber=2.8", "-ExposureTime=1/250", "-FocalLength=35", "-DateTimeOriginal=2024:05:01 10:11:12")
    picture("phone.jpg", "48x64")
    tag("phone.jpg", "-Make=Apple", "-Model=iPhone 13 Pro Max", "-LensModel=iPhone 13 Pro Max back camera 5.7mm f/1.5",
        "-ISO=50", "-FNumber=1.5", "-ExposureTime=1/3003", "-FocalLength=4.25", "-Orientation#=6")
    picture("night.jpg")
    tag("night.jpg", "-Make=NIKON CORPORATION", "-Model=NIKON D850", "-ISO=6400", "-FNumber=8", "-ExposureTime=2",
        "-FocalLength=14")
    picture("scripts.jpg")
    tag("scripts.jpg", "-Make=Зенит", "-Model=Зенит ET", "-LensModel=東京光学 Topcor 58mm", "-ISO=100")
    picture("no_metadata.jpg")
    picture("xmp_only.jpg")
    tag("xmp_only.jpg", "-XMP-tiff:Make=FUJIFILM", "-XMP-tiff:Model=X-T4", "-XMP-exifEX:LensModel=XF35mmF1.4 R",
        "-XMP-exif:ISO=200", "-XMP-exif:FNumber=5.6", "-XMP-exif:ExposureTime=1/60", "-XMP-exif:FocalLength=35",
        "-XMP-xmp:CreateDate=2005:09:07 15:07:40-07:00", "-XMP-dc:Title=Harbour / dawn", "-IPTC:City=Reykjavík")
    picture("picture.png")
    tag("picture.png", "-Make=SONY", "-Model=ILCE-7M3", "-LensModel=FE 85mm F1.8", "-ISO=800", "-FNumber=1.8",
        "-ExposureTime=1/1000", "-FocalLength=85")
    picture("scan.tif", "40x30")
    tag("scan.tif", "-Make=EPSON", "-Model=Perfection V600")

    # Music, each tag in the encoding its format declares.
    sound("id3v24.mp3", 7.4, "-c:a", "libmp3lame", "-b:a", "8k")
    tags = ID3()
    for frame in (TPE1(encoding=3, text="Сплин"), TPE2(encoding=3, text="Сплин"), TALB(encoding=3, text="Гранатовый альбом"),
                  TIT2(encoding=3, text="Выхода нет"), TRCK(encoding=3, text="3/12"), TPOS(encoding=3, text="1/2"),
                  TDRC(encoding=3, text="1998-03-01"), TCON(encoding=3, text="Rock")):
        tags.add(frame)
    tags.save("id3v24.mp3", v2_version=4)
    sound("id3v23.mp3", 67.3, "-c:a", "libmp3lame", "-b:a", "8k")
    tags = ID3()
    for frame in (TPE1(encoding=1, text="東京事変"), TIT2(encoding=1, text="群青日和"), TALB(encoding=1, text="教育"),
                  TRCK(encoding=1, text="1"), TYER(encoding=1, text="2004"), TCON(encoding=1, text="(17)")):
        tags.add(frame)
    tags.save("id3v23.mp3", v2_version=3)
    sound("id3v1.mp3", 3.3, "-c:a", "libmp3lame", "-b:a", "8k")
    # ID3v1 alone: 128 bytes of Latin-1 at the end.
    def field(text, size):
        return text.encode("latin-1")[:size].ljust(size, b"\0")
    with open("id3v1.mp3", "ab") as mp3:
        mp3.write(b"TAG" + field("Hoppípolla", 30) + field("Sigur Rós", 30) + field("Takk...", 30) + b"2005"
                  + field("", 28) + b"\0" + bytes([5]) + bytes([24]))
    sound("slash.flac", 4.4, "-c:a", "flac")
    flac = FLAC("slash.flac")
    flac.update({"ARTIST": "AC/DC", "TITLE": "Back in Black", "ALBUM": "Back in Black", "TRACKNUMBER": "6",
                 "DISCNUMBER": "1", "DATE": "1980-07-25", "GENRE": "Hard Rock"})
    flac.save()
    sound("vorbis.ogg", 5.5, "-c:a", "libvorbis")
    ogg = OggVorbis("vorbis.ogg")
    ogg.update({"ARTIST": "Sigur Rós", "TITLE": "Glósóli", "ALBUM": "Takk...", "TRACKNUMBER": "2/11", "DATE": "2005"})
    ogg.save()
    sound("opus.opus", 6.4, "-c:a", "libopus", "-b:a", "16k")
    opus = OggOpus("opus.opus")
    opus.update({"ARTIST": "東京事変", "ALBUMARTIST": "東京事変", "TITLE": "修羅場", "TRACKNUMBER": "9"})
    opus.save()
    sound("atoms.m4a", 8.3, "-c:a", "aac", "-b:a", "16k")
    atoms = MP4("atoms.m4a")
    atoms.update({"\xa9ART": ["Сплин"], "aART": ["Сплин"], "\xa9alb": ["25 кадр"], "\xa9nam": ["Романс"],
                  "trkn": [(2, 10)], "disk": [(1, 1)], "\xa9day": ["2001"], "\xa9gen": ["Rock"]})
    atoms.save()
    sound("long.flac", 2.4, "-c:a", "flac")
    long = FLAC("long.flac")
    long.update({"TITLE": "Ünïcödé " * 40, "ARTIST": "\tBjörk\n"})
    long.save()
    sound("untagged.mp3", 2.4, "-c:a", "libmp3lame", "-b:a", "8k")
    sound("empty_tags.flac", 2.4, "-c:a", "flac")
    empty = FLAC("empty_tags.flac")
    empty.update({"ARTIST": "", "TITLE": ""})
    empty.save()

    # Recordings: their picture's size as stored, and their length.
    video("hd.mp4", "1280x720", 5.5, "-c:v", "mpeg4", "-metadata", "title=Harbour at dawn")
    video("portrait.mov", "1080x1920", 3.4, "-c:v", "mpeg4", "-metadata:s:v", "rotate=90")
    video("hour.mkv", "32x32", 3725.4, "-c:v", "mpeg4")
    video("web.webm", "320x240", 2.5, "-c:v", "libvpx")


# The forms names show values in.

def one_decimal(value):
    text = "%.1f" % value
    return text[:-2] if text.endswith(".0") else text


def for_name(value):
    text = "".join("_" if c == "/" else c for c in value if not (ord(c) < 0x20 or 0x7F <= ord(c) < 0xA0))
    return text.strip()


def length(seconds):
    whole = int(seconds)
    if whole >= 3600:
        return "%d.%02d.%02d" % (whole // 3600, whole // 60 % 60, whole % 60)
    return "%d.%02d" % (whole // 60, whole % 60)


def leading_number(text):
    digits = ""
    for c in text.strip():
        if not c.isdigit():
            break
        digits += c
    return digits


def exiftool(folder):
    output = subprocess.run(["exiftool", "-j", "-G1", "-charset", "exif=utf8", folder], check=True,
                            capture_output=True).stdout
    found = {}
    for tags in json.loads(output):
        name = os.path.basename(tags["SourceFile"])
        def first(*keys):
            for key in keys:
                if key in tags and str(tags[key]).strip():
                    return str(tags[key]).strip()
            return ""
        values = {
            "make": first("IFD0:Make", "XMP-tiff:Make", "PNG:Make"),
            "model": first("IFD0:Model", "XMP-tiff:Model"),
            "lens": first("ExifIFD:LensModel", "XMP-exifEX:LensModel", "XMP-aux:Lens"),
            "iso": first("ExifIFD:ISO", "XMP-exif:ISO"),
        }
        number = first("ExifIFD:FNumber", "XMP-exif:FNumber")
        values["aperture"] = "f" + one_decimal(float(number)) if number else ""
        values["exposure"] = first("ExifIFD:ExposureTime", "XMP-exif:ExposureTime")
        focal = first("ExifIFD:FocalLength", "XMP-exif:FocalLength")
        values["focal"] = one_decimal(float(focal.split()[0])) + "mm" if focal else ""
        width, height = first("File:ImageWidth", "IFD0:ImageWidth", "PNG:ImageWidth", "QuickTime:ImageWidth"), \
            first("File:ImageHeight", "IFD0:ImageHeight", "PNG:ImageHeight", "QuickTime:ImageHeight")
        values["width"], values["height"] = width, height
        values["resolution"] = f"{width}x{height}" if width and height else ""
        found[name] = values
    return found


# Tags by their exiv2 keys, as exiv2 prints them; a text in several
# languages as its default language's.
TAG_KEYS = ["Exif.Photo.LensModel", "Exif.Photo.ExposureTime", "Xmp.dc.title", "Iptc.Application2.City"]


def exiv2(path):
    values = {}
    # exiv2 reads HEIF only through its ISO media support, which its own
    # command leaves off: it is given the EXIF and XMP exiftool finds there.
    sources = [path]
    aside = tempfile.TemporaryDirectory()
    if path.lower().endswith((".heic", ".heif")):
        sources = []
        for block, suffix in (("-EXIF", ".tif"), ("-XMP", ".xmp")):
            extracted = subprocess.run(["exiftool", "-b", block, path], capture_output=True).stdout
            if extracted:
                sources.append(os.path.join(aside.name, "block" + suffix))
                with open(sources[-1], "wb") as out:
                    out.write(extracted)
    for key in TAG_KEYS:
        printed = b"".join(subprocess.run(["exiv2", "-q", "-K", key, "-Pt", source], capture_output=True).stdout
                           for source in sources)
        # IPTC without a declared character set is Latin-1.
        try:
            printed = printed.decode("utf-8").strip()
        except UnicodeDecodeError:
            printed = printed.decode("latin-1").strip()
        if printed.startswith('lang="x-default" '):
            printed = printed[len('lang="x-default" '):]
        values["tag " + key] = printed
    return values


def ffprobe(path):
    output = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration:stream=codec_type,width,height",
                             "-of", "json", path], capture_output=True).stdout
    probed = json.loads(output or "{}")
    values = {}
    duration = probed.get("format", {}).get("duration")
    if duration:
        values["duration"] = length(float(duration))
    for stream in probed.get("streams", []):
        if stream.get("codec_type") == "video" and stream.get("width"):
            values["resolution"] = "%dx%d" % (stream["width"], stream["height"])
            values["width"], values["height"] = str(stream["width"]), str(stream["height"])
            break
    return values


def music(path):
    read = mutagen.File(path, easy=True)
    if read is None:
        return {}
    def value(key):
        texts = [text.strip() for text in (read.tags or {}).get(key, []) if text.strip()]
        return ", ".join(texts)
    track = value("tracknumber")
    disc = value("discnumber")
    year = value("date")[:4]
    return {
        "artist": value("artist"), "albumartist": value("albumartist"), "album": value("album"),
        "title": value("title"), "genre": value("genre"),
        "track": (leading_number(track).lstrip("0") or "0").zfill(2) if leading_number(track) else track,
        "disc": str(int(leading_number(disc))) if leading_number(disc) else disc,
        "year": year if year.isdigit() else "",
    }


def expect(folder):
    found = exiftool(folder)
    for name in sorted(os.listdir(folder)):
        path = os.path.join(folder, name)
        values = found.setdefault(name, {})
        extension = name.rsplit(".", 1)[-1].lower()
        if extension in ("jpg", "png", "tif", "heic", "heif"):
            values.update(exiv2(path))
        if extension in ("mp3", "flac", "ogg", "opus", "m4a"):
            values.update(music(path))
            values["duration"] = ffprobe(path).get("duration", "")
        elif extension in ("mp4", "mov", "mkv", "webm"):
            values.update(ffprobe(path))
            if extension in ("mp4", "mov"):
                values.update({key: value for key, value in music(path).items() if value})
        for key in list(values):
            values[key] = for_name(values[key])
    json.dump(found, sys.stdout, ensure_ascii=False, indent=1, sort_keys=True)


if __name__ == "__main__":
    {"make": make, "expect": expect}[sys.argv[1]](sys.argv[2])
