// TODO: begin
