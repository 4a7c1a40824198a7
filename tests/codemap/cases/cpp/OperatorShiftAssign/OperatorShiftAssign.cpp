struct A { A &operator<<=(int); A &operator>>=(int); A &operator->*(int); };
