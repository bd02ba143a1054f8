<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<meta http-equiv="refresh" content="0;url=admin/index.asp">
<title>Ostrakan</title>
</head>
<body><a href="admin/index.asp">进入管理后台</a></body>
</html>
