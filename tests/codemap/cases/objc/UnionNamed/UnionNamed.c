union value { int i; float f; };
