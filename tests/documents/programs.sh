#!/usr/bin/env bash
# Builds and runs the examples in C of the reference, each in a program of its own around it.
# programs.sh REFERENCE INCLUDE_FOLDER RUNTIME MODULE COMPILER [FLAG...]
set -euo pipefail
reference=$1 include=$2 runtime=$3 module=$4
shift 4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

{
    cat <<'C'
#include <picturekzb/runtime.h>
#include <stdio.h>
static kzb_value integer(int64_t number) {
    kzb_value value = {.kind = KZB_INTEGER, .integer = number};
    return value;
}
static kzb_error error;
C
    awk '/^### / { name = $2 }
         /^```c$/ { print "static void " name "_(KZBObject image, kzb_value picture) {\n(void)image, (void)picture;"; on = 1; next }
         /^```$/ && on { print "}"; names[++count] = name; on = 0 }
         on
         END {
             print "static struct { const char *name; void (*run)(KZBObject, kzb_value); } all[] = {"
             for (i = 1; i <= count; ++i) print "{\"" names[i] "\", " names[i] "_},"
             print "};"
         }' "$reference"
    cat <<'C'
int main(int count, char **arguments) {
    (void)count;
    if (!kzb_module_load(arguments[1], &error)) return puts(error.message), 1;
    for (size_t i = 0; i < sizeof all / sizeof all[0]; ++i) {
        kzb_value size[] = {integer(48), integer(32), integer(2)};
        kzb_value image = {.kind = KZB_OBJECT}, picture = {.kind = KZB_OBJECT};
        image.object = kzb_new("PictureKZB", size, 3, &error);
        picture.object = (KZBObject)kzb_picture_new(48, 32, 32);
        puts(all[i].name);
        all[i].run(image.object, picture);
        kzb_release(&image), kzb_release(&picture);
        if (error.status != KZB_OK) return puts(error.message), 1;
        if (kzb_live_count(NULL) != 0) return puts("objects are left"), 1;
    }
    return sizeof all / sizeof all[0] < 10;
}
C
} >"$folder/examples.c"
"$@" -std=c11 -Wall -Wextra -Werror -I"$include" "$folder/examples.c" "$runtime" -Wl,-rpath,"$(dirname "$runtime")" \
    -o "$folder/examples"
"$folder/examples" "$module"
