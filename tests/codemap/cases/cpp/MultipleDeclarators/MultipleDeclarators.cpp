int a, *b, &c = a, d[2], (*e)(int) = nullptr;
