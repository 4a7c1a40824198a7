enum { A = 0x10, B = 'b', C = A | (1 << 2), D = sizeof(int) };
