// The date a photograph was taken, read from its EXIF data.
function init() {
    return true;
}

// A date, or false for a file that records none.
function get_exif_image_created_date(path) {
    return callClassMethod("NomenExif", "imageCreatedDate:", [path]);
}
