#pragma once

// With TZ unset, the C library looks at /etc/localtime again on every
// local-time conversion (a file status call each time), which dominated
// listing large folders. Naming the same file in TZ makes it read once.
// Call before any thread starts; a TZ the user set is left alone.
void pinLocalTimeZone();
