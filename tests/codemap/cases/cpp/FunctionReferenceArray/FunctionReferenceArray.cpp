int (&rows())[3] { static int a[3]; return a; }
