union value { struct { int a; } whole; double real; };
