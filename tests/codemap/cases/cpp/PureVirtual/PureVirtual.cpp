struct Base { virtual int a() const = 0; virtual ~Base() = 0; };
