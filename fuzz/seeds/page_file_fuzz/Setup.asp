<%
' Site settings, read by the page engine at start. One assignment a line: Name="value".
' DB names the SQLite database file, relative to the site root.
WebSite_Title="Ostrakan ÊÓÆµËÑË÷"
Web_Path="/"
DB="data/ostrakan.db"
Save_DB="data/ostrakan.db"
ODB="data/ostrakan.db"
Source_Show="1"
Keyword_Add="1"
Admin_Session="Ostrakan_Admin"
Query_Word="q"
Query_Name="ËÑË÷"
I="20"
Form_Word="q"
Form_Name="search"
%>
