<%@ Component="Ostrakan.Class52" %><% id = Request("id") %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>编号采集</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>编号采集 - <% InitFunction4 %></h3>
<form accept-charset="gb18030" name="form" method="post" action="gather_id_db_ok.asp">
<table class="form">
<tr><th>起始ID：</th><td><input type="text" name="ID_Start" size="10"></td></tr>
<tr><th>结束ID：</th><td><input type="text" name="ID_End" size="10"></td></tr>
<tr><th></th><td><input type="hidden" name="ID" value="<% InitFunction5 %>"><input type="submit" value="开始采集" class="button"></td></tr>
</table>
</form>
</body>
</html>
