<%@ Component="Ostrakan.Class10" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><% InitFunction4 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>关键词管理</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function keyword_delete(id) {
  if (confirm('确定要删除这个关键词吗？')) location.href = 'keyword_ok.asp?action=del&id=' + id;
}
function select_all(box) {
  var boxes = box.form.querySelectorAll('input[name=id]');
  for (var i = 0; i < boxes.length; i++) boxes[i].checked = box.checked;
}
</script>
</head>
<body class="content">
<h3>关键词管理</h3>
<form accept-charset="gb18030" name="search" method="get" action="keyword_manage.asp" class="filter">
关键词：<input type="text" name="keyword" id="keyword" maxlength="50" class="input">
<input type="submit" value="筛 选" class="button">
<a href="keyword_manage.asp">全部关键词</a>
</form>
<form accept-charset="gb18030" name="list" method="get" action="keyword_ok.asp" onsubmit="return confirm('确定要删除选中的关键词吗？')">
<input type="hidden" name="action" value="alldel">
<% InitFunction5 %>
<p class="batch" id="batch"><label><input type="checkbox" onclick="select_all(this)"> 全选</label> <input type="submit" value="删除选中" class="button"></p>
</form>
<script type="text/javascript">
if (!document.querySelector('form[name=list] input[name=id]')) document.getElementById('batch').style.display = 'none';
</script>
</body>
</html>
