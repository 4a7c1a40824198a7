int /* result */ add(int a /* first */, // { 
                     int b) { return a; }
