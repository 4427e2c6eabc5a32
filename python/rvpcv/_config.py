# Where the package finds the library and its headers; the build and the
# install write their own copy of this file. Relative paths are taken from
# this package's folder. RVPCV_LIBRARY_DIR and RVPCV_INCLUDE override both.
LIBRARY_DIR = "../../build/release"
INCLUDE_DIR = "../../include"
