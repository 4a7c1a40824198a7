class Outer::Inner { int a; };
