// A library that does nothing.
const int planted_library = 1;
