<%@ Component="Ostrakan.Class43" %><%@ Rule="gather_id_web_list.asp" %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>编号采集网站测试</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>编号采集网站测试 - <% InitFunction2 %></h3>
<form accept-charset="gb18030" name="form" method="post" action="gather_id_web_verify.asp?id=<% InitFunction3 %>">
起始ID：<input type="text" name="ID_Start" size="10" class="input short">
结束ID：<input type="text" name="ID_End" size="10" class="input short">
<input type="hidden" name="Action" value="ok">
<input type="submit" value="测 试" class="button">
</form>
<% InitFunction4 %>
</body>
</html>
