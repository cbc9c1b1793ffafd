/* A library whose file has another name than the one by which its users look for it. */
__attribute__((visibility("default"))) int from_absent_library(void);

int from_absent_library(void) {
    return 0;
}
