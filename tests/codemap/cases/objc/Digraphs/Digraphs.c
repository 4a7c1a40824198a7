%:define LIMIT 3
int list<:3:>;
void run(void) <% if (1) <% %> %>
int after;
