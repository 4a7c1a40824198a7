enum Kind { one, two } kind = one, *pointer;
