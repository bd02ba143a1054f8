<%@ Component="Ostrakan.Class64" %><% Admin_Session = Setting("Admin_Session") %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title><%= Setting("WebSite_Title") %> - 管理后台</title>
</head>
<frameset rows="48,*" frameborder="0" border="0" framespacing="0">
  <frame src="top.asp" name="top" scrolling="no" noresize>
  <frameset cols="180,*" frameborder="0" border="0" framespacing="0">
    <frame src="left.asp" name="left" scrolling="auto" noresize>
    <frame src="desktop.asp" name="main" scrolling="auto">
  </frameset>
</frameset>
</html>
