union Value { int i; Value() : i(0) {} ~Value() {} };
