#!/usr/bin/perl
# Writes small camera raw files that hold only what a reader of dates looks
# at: the container each camera maker uses, with an IFD0 naming the camera
# and an EXIF IFD holding the date taken and its offset. No image data.
#   raws.pl DIR JPEG 'YYYY:MM:DD HH:MM:SS' [+HH:MM]
# JPEG is a small JPEG holding the same date, for the formats that embed one.
use strict;
use warnings;

my ($out, $jpeg, $taken, $offset) = @ARGV;
die "usage: raws.pl DIR JPEG DATE [OFFSET]\n" unless defined $taken;

# One IFD at `at`: entries [tag, type, value], values that do not fit in
# four bytes after the entries.
sub ifd {
    my ($at, @entries) = @_;
    my $dataAt = $at + 2 + 12 * @entries + 4;
    my ($dir, $data) = (pack('v', scalar @entries), '');
    for my $e (sort { $a->[0] <=> $b->[0] } @entries) {
        my ($tag, $type, $value) = @$e;
        if ($type == 2) {
            my $text = "$value\0";
            if (length $text <= 4) {
                $dir .= pack('vvVa4', $tag, 2, length $text, $text);
            } else {
                $dir .= pack('vvVV', $tag, 2, length $text, $dataAt + length $data);
                $data .= $text . (length($text) % 2 ? "\0" : '');
            }
        } elsif ($type == 1) {
            $dir .= pack('vvVC4', $tag, 1, scalar @$value, @$value);
        } elsif ($type == 3) {
            $dir .= pack('vvVvv', $tag, 3, 1, $value, 0);
        } else {
            $dir .= pack('vvVV', $tag, 4, 1, $value);
        }
    }
    return $dir . pack('V', 0) . $data;
}

sub exifEntries {
    my @e = ([0x9003, 2, $taken], [0x9004, 2, $taken]);
    push @e, [0x9011, 2, $offset] if defined $offset;
    return @e;
}

# A TIFF-structured file: the header, then IFD0 at `ifd0`, then the EXIF IFD.
sub tiff {
    my ($header, $ifd0, $make, $model, @extra) = @_;
    my @ifd0 = ([0x010F, 2, $make], [0x0110, 2, $model], [0x0100, 4, 1], [0x0101, 4, 1], @extra);
    my $first = ifd($ifd0, @ifd0, [0x8769, 4, 0]);
    my $exifAt = $ifd0 + length $first;
    $first = ifd($ifd0, @ifd0, [0x8769, 4, $exifAt]);
    return $header . ("\0" x ($ifd0 - length $header)) . $first . ifd($exifAt, exifEntries());
}

sub write_file {
    my ($name, $bytes) = @_;
    open(my $f, '>:raw', "$out/$name") or die "$out/$name: $!\n";
    print $f $bytes;
    close $f or die "$out/$name: $!\n";
}

write_file('raw_nikon.nef', tiff("II*\0" . pack('V', 8), 8, 'NIKON CORPORATION', 'NIKON D750'));
write_file('raw_sony.arw', tiff("II*\0" . pack('V', 8), 8, 'SONY', 'ILCE-7M3'));
write_file('raw_adobe.dng', tiff("II*\0" . pack('V', 8), 8, 'Canon', 'Canon EOS R5', [0xC612, 1, [1, 4, 0, 0]]));
# Canon's CR2: "CR", its version and the raw IFD's place after the TIFF header.
write_file('raw_canon.cr2', tiff("II*\0" . pack('V', 16) . "CR\x02\0" . pack('V', 0), 16, 'Canon', 'Canon EOS 5D Mark IV'));
# Olympus marks its TIFF "RO" where TIFF has 42.
write_file('raw_olympus.orf', tiff("IIRO" . pack('V', 8), 8, 'OLYMPUS CORPORATION', 'E-M1MarkII'));
# Panasonic's RW2: 0x55 for 42, IFD0 at 0x18.
write_file('raw_panasonic.rw2', tiff("IIU\0" . pack('V', 0x18), 0x18, 'Panasonic', 'DC-GH5'));

# Fujifilm's RAF: a header naming the camera, then where its JPEG (which
# holds the EXIF) and its raw data (a TIFF structure) lie.
{
    open(my $f, '<:raw', $jpeg) or die "$jpeg: $!\n";
    local $/;
    my $embedded = <$f>;
    # A camera's JPEG opens with its EXIF segment, where readers look for it.
    if (substr($embedded, 0, 4) eq "\xFF\xD8\xFF\xE0") {
        substr($embedded, 2, 2 + unpack('n', substr($embedded, 4, 2))) = '';
    }
    my $raw = "II*\0" . pack('V', 8) . ifd(8, [0x010F, 2, 'FUJIFILM']);
    my $header = pack('a16a4a8a32a4a20', 'FUJIFILMCCD-RAW ', '0201', 'FF383501', 'X-T3', '0100', '');
    my $at = length($header) + 24;
    my $rawAt = $at + length $embedded;
    $header .= pack('N6', $at, length $embedded, 0, 0, $rawAt, length $raw);
    write_file('raw_fujifilm.raf', $header . $embedded . $raw);
}

# Canon's CR3, an ISO media file: its metadata are TIFF structures in boxes
# inside Canon's own box in the movie box (CMT1 the camera, CMT2 EXIF).
{
    my $box = sub { my ($type, $body) = @_; return pack('N', 8 + length $body) . $type . $body };
    my $cmt1 = "II*\0" . pack('V', 8) . ifd(8, [0x010F, 2, 'Canon'], [0x0110, 2, 'Canon EOS R6']);
    my $cmt2 = "II*\0" . pack('V', 8) . ifd(8, exifEntries());
    my $canon = pack('H*', '85c0b687820f11e08111f4ce462b6a48') . $box->('CNCV', 'CanonCR3_001/00.09.00/00.00.00')
                . $box->('CMT1', $cmt1) . $box->('CMT2', $cmt2);
    write_file('raw_canon.cr3', $box->('ftyp', 'crx ' . pack('N', 1) . 'crx isom') . $box->('moov', $box->('uuid', $canon)));
}
