enum flags { A = 1 << 0, B = (1 << 1), C = sizeof(int), D = ',', E = 'x' };
