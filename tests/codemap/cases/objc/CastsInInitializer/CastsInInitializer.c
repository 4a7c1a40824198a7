int a = (int)(char)'{', b = (struct tide){1}.height;
int after;
