struct A { A operator + (int); bool operator () (int) const; A & operator [] (int); };
